#pragma once

namespace test
{

/// The leak check looks at a leak's libraries when the program ends. Drivers would be unloaded by then, so that no
/// suppression could match their names: everything loaded now stays.
void pinLoadedLibraries();

} // namespace test
