#pragma once

#include <string>

namespace KovoSim::Pam {

// The host's rule for new passwords: at least 8 characters, at least three of the four classes
// (lower case, upper case, digits, others), and not containing the account's name. Check() returns an
// empty string for a good password, else the reason, as the operator is told.
class PasswordRule {
  public:
    static constexpr size_t kMinLength = 8;
    static std::string Check(const std::string& user, const std::string& password);
};

}  // namespace KovoSim::Pam
