#include "Cell.h"

namespace KovoTerm {

std::string Cell::Describe() const {
    return "'" + text + "' fg " + fg.Describe() + " bg " + bg.Describe() + (bold ? " bold" : "") +
           (reverse ? " reverse" : "");
}

}  // namespace KovoTerm
