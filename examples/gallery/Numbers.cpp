#include "Numbers.h"

namespace gallery
{

std::string grouped(long number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3; place -= 3)
        text.insert(place - 3, ",");
    return text;
}

} // namespace gallery
