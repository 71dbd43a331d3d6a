// Keeps the library with this code in the process for good.
//
// An unloaded one leaves memory, handles and a slot of thread data of its C++ run-time library
// behind each time, and a server loads it again with each start of the service.
#pragma once

// May be called again; nothing happens where the system refuses.
void StayLoaded() noexcept;
