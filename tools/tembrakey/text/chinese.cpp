#include "tembrakey/text/chinese.h"

namespace tembra::tool {

namespace {

const Translation texts[] = {
    {"No token is connected", "没有连接令牌"},
};

} // namespace

std::span<const Translation> chineseTexts() {
    return texts;
}

} // namespace tembra::tool
