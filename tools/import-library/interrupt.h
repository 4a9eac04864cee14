// Ctrl-C and other signals that end the program.
#pragma once

namespace lumo::library {

/// From now on the first SIGINT, SIGTERM and SIGHUP are stored instead of ending the program; the
/// second of each ends it. Signals that are ignored stay ignored.
void watch_interrupts();

/// The number of the signal that was received; 0 for none.
int interrupted_by();

} // namespace lumo::library
