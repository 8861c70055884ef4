#pragma once

#include <string>

#include "platform/store/HostStore.h"

// The platform's preferences: a small set of settings kept in the host store ("/system/preferences").
// Init loads them once per process; false (and a log line) when the store cannot be read.
bool Preference_Init(const ZenkCtl::Store::HostStore& store);

// A loaded preference as text, or fallback when it is not set or Init has not succeeded.
std::string Preference_GetString(const std::string& name, const std::string& fallback);
