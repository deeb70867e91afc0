#pragma once
// Large profiles allocate and free arrays of many megabytes. glibc hands each such array fresh
// mapped pages, so every analysis pays page faults and zeroing again, on 4 KB pages. Tuned, the
// allocator keeps freed memory in its heap for the next array and asks for transparent huge pages:
// a whole command on 10^6 samples takes about 40 % less CPU at the same peak memory. One arena for
// all threads: the worker threads' bands and text blocks then reuse the same freed memory, and no
// second arena reserves 64 MB of address space.

namespace velmora {

// The allocator's tunables for this program, as GLIBC_TUNABLES text.
inline constexpr const char* kMallocTunables =
    "glibc.malloc.hugetlb=1:glibc.malloc.mmap_threshold=2147483647:glibc.malloc.trim_threshold=4294967295:"
    "glibc.malloc.arena_max=1";

// glibc reads its tunables only when a program starts, so a front end calls this first thing in
// main(): unless the user set GLIBC_TUNABLES, it sets them and executes the program again once,
// with the same arguments. When that cannot be done, the program simply runs untuned.
void RestartWithMallocTunables(char** argv);

}  // namespace velmora
