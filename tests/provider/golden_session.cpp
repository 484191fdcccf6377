// The trace of a whole session over the scripted token, line by line.
#include "scripted_test.h"
#include "typical_session.h"

namespace tembra::test {
namespace {

class GoldenSession : public ScriptedTest {};

TEST_F(GoldenSession, MatchesLineByLine) {
    ApplicationModel &application = addToken({ecc(sessionLabel, true, false)});
    application.pins[USER_TYPE] = sessionPin;
    script().memory.devices.front().info.AlgSymCap = SGD_SMS4_ECB | SGD_SMS4_CBC;
    ASSERT_EQ(DeviceEnd(), 1);
    trace().setLevel("5");
    mark();
    ASSERT_EQ(DeviceInit(), 1);
    EXPECT_EQ(runTypicalSession(), encodedSignature());
    Lines expected = goldenInit();
    const Lines rest = goldenSession();
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(maskedTrace(), expected);
    EXPECT_EQ(script().memory.open(), 0);
    ASSERT_EQ(DeviceInit(), 1); // the fixture ends it
}

} // namespace
} // namespace tembra::test
