// A library whose plan comes from the environment, as tests/devkit/CMakeLists.txt sets it.
#include <gtest/gtest.h>

#include "door/call.h"

TEST(Environment, PlanIsReadAtTheFirstCall) {
    tembra::door::Call first("SKF_EnumDev");
    tembra::door::Call second("SKF_EnumDev");
    EXPECT_FALSE(first.planned());
    ASSERT_TRUE(second.planned());
    EXPECT_EQ(second.fault(), 0x0A00002DU);
}
