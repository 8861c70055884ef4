#pragma once

#include "app/Frame.h"

namespace Kovo {

// The idle screen. For now it shows only the product line and the key line; the host identity,
// management addresses and the login round trip are still to come.
class WelcomeWindow : public Frame {
public:
    WelcomeWindow();
    int HandleKey() override;
    void Notification() override;

private:
    void Build();
};

}  // namespace Kovo
