// Ctrl-C, and other requests to end.
#pragma once

namespace lumo::library {

/// From now on SIGINT, SIGTERM and SIGHUP are remembered instead of ending the program; those that
/// are ignored stay ignored. The second of a kind ends it.
void watch_interrupts();

/// The number of the signal that came; 0 when none did.
int interrupted_by();

} // namespace lumo::library
