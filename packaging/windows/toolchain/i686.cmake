set(CMAKE_SYSTEM_PROCESSOR i686)
set(triple i686-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")

# Every Windows 10 has SSE2, and numbers come out as on 64 bit only with it. 32-bit Windows calls
# back with a stack aligned to 4 bytes, which SSE code has to straighten.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
