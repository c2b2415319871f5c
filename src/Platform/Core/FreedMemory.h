// What becomes of memory that the program has freed.
#pragma once

namespace FreedMemory {

/// From now on large blocks are the system's own mappings, which it gets back when they are freed, and the
/// heaps keep little of what is free at their ends. The C library would raise both limits by itself as blocks
/// are freed, to 32 and 64 MB, the latter for each of eight heaps a processor: hundreds of MB would stay
/// behind when tables and images go. Before there are threads.
void goesBackToTheSystem();

} // namespace FreedMemory
