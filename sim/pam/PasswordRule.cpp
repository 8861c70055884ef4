#include "PasswordRule.h"

#include <algorithm>
#include <cctype>

namespace KovoSim::Pam {
namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

}  // namespace

std::string PasswordRule::Check(const std::string& user, const std::string& password) {
    if (password.size() < kMinLength) return "The password is shorter than 8 characters";
    bool lower = false, upper = false, digit = false, other = false;
    for (unsigned char c : password) {
        if (std::islower(c))
            lower = true;
        else if (std::isupper(c))
            upper = true;
        else if (std::isdigit(c))
            digit = true;
        else
            other = true;
    }
    if (lower + upper + digit + other < 3)
        return "The password must mix at least three of: lower case, upper case, digits, other characters";
    if (!user.empty() && Lower(password).find(Lower(user)) != std::string::npos)
        return "The password must not contain the user name";
    return {};
}

}  // namespace KovoSim::Pam
