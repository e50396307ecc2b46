#pragma once

namespace tickwise {

/// Ends the program, in every build, when it is called on another thread than the application's. The argument names the
/// calling function.
void requireMainThread(const char *function = __builtin_FUNCTION());

} // namespace tickwise
