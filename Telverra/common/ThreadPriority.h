#pragma once

/// Scheduling priority of the calling thread (on Linux each thread has a nice value of its own). Work the user does not
/// wait for, such as reading a large address book while the window starts, runs at a higher nice value so that the
/// window's threads keep the processor.
namespace ThreadPriority {

/// The nice value the background work runs at: the lowest priority, so that it takes the processor only when the
/// window does not need it.
inline constexpr int background = 19;

/// The calling thread's nice value.
int niceness();
/// Raises the calling thread's nice value to `nice` when it is lower. Lowering it again takes a privilege, so it is
/// never tried: call this only on threads kept for such work.
void raiseNiceness(int nice);

} // namespace ThreadPriority
