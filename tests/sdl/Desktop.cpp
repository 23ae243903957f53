#include "Desktop.h"

namespace test
{

std::unique_ptr<ShownWindow> Desktop::makeWindow(const char* title, const td::Size<double>& size) const
{
    return std::make_unique<OwnWindow>(title, size);
}

} // namespace test
