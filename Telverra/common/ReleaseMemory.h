#pragma once

#ifdef __GLIBC__
#include <malloc.h>
#endif

/// Hands the pages freed by a large piece of work (reading an address book, filling a list of thousands) back to the
/// system; otherwise they stay with the heap of the thread that freed them, tens of megabytes for 100,000 contacts.
inline void releaseFreedMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
