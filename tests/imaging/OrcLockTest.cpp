#include <dlfcn.h>
#include <gtest/gtest.h>

#include "imaging/VipsRuntime.h"

// libvips must compile and free its orc programs through our locked calls, not liborc's own:
// were they no longer exported from the program, runs on several cores could crash again.
TEST(OrcLock, LibvipsReachesOrcThroughTheLock) {
    ASSERT_TRUE(VipsRuntime::ensureStarted());
    Dl_info program{};
    ASSERT_TRUE(::dladdr(reinterpret_cast<void*>(&VipsRuntime::ensureStarted), &program));
    void* orc = ::dlopen("liborc-0.4.so.0", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(orc, nullptr) << "libvips runs without orc";
    for (const char* name : {"orc_program_compile", "orc_program_free"}) {
        void* used = ::dlsym(RTLD_DEFAULT, name);
        Dl_info where{};
        ASSERT_TRUE(::dladdr(used, &where)) << name;
        EXPECT_EQ(where.dli_fbase, program.dli_fbase) << name;
        EXPECT_NE(used, ::dlsym(orc, name)) << name;
    }
    ::dlclose(orc);
}
