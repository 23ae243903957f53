// What a program of GTK's does with its widgets.

#include "DesktopTest.h"

namespace test
{

namespace
{

INSTANTIATE_TEST_SUITE_P(Gtk, DesktopTest, testing::Values(0));

} // namespace

} // namespace test
