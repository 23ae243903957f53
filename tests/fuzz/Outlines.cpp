#include "Outlines.h"

#include <gui/gl/CurrentContext.h>

namespace fuzz
{

test::Outline takeOutline(Input& input, std::size_t max)
{
    const unsigned int way = input.below(4);
    // A grid anywhere, of any width, rounds as floats do.
    const float step = way < 3 ? 1.0f : input.take<float>(), origin = way < 3 ? 0.0f : input.take<float>();
    test::Outline points;
    while (input.left() > 0 && points.size() < max)
    {
        td::Point<float> point;
        for (float* const pValue : {&point.x, &point.y})
        {
            if (way == 0)
                *pValue = input.take<float>();
            else if (way == 1)
                *pValue = static_cast<float>(input.take<std::int16_t>());
            else
                *pValue = origin + step * static_cast<float>(input.take<std::int8_t>());
        }
        points.push_back(point);
    }
    return points;
}

test::Tessellating& shapes()
{
    static test::GLTrace s_trace(test::GLTrace::Null);
    static test::CapturedLog s_log;
    static test::Tessellating s_shapes(s_trace, s_log);
    gui::gl::CurrentContext::set(&s_trace);
    s_trace.clear();
    return s_shapes;
}

void require(const testing::AssertionResult& holds) { require(static_cast<bool>(holds), holds.message()); }

} // namespace fuzz
