#pragma once

#include "Sight.h"

#include <common/Captions.h>
#include <common/TopoJSON.h>

#include <td/Size.h>

#include <string>
#include <vector>

namespace globe
{

/// The names of countries that face the eye, as many as there is room for, the largest first.
class Labels
{
public:
    /// @param countries  read during the call only
    /// @return false, after a line in the log, when a font is missing
    [[nodiscard]] bool init(const examples::TopoJSON& countries);

    /// @param size   of the frame, in points  @param scale  device pixels per point
    void draw(const Sight& sight, const td::Size<double>& size, float scale);

    /// The names that were drawn last.
    const std::vector<std::string>& getShown() const { return _shown; }

private:
    struct Country
    {
        std::string name;
        glm::vec3 direction; // of the middle of its largest piece
        float extent;        // of that piece, in radians
    };

    examples::Captions _captions;
    std::vector<Country> _countries; // from the largest to the smallest
    std::vector<std::string> _shown;
};

} // namespace globe
