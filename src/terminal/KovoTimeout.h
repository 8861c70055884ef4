#pragma once

namespace Kovo {

// Thrown by the key reader at the idle logout; unwinds every open dialog back to the welcome window.
class KovoTimeout {};

}  // namespace Kovo
