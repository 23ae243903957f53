#include <td/Color.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>

namespace td
{

void Color::refuse(std::string_view text)
{
    constexpr std::size_t cMostShown = 40;
    vo::dbgLog("Error! td::Color cannot read a colour in '%.*s'", static_cast<int>(std::min(text.size(), cMostShown)),
               text.data());
    TD_ASSERT(false);
}

} // namespace td
