#pragma once

namespace gui::gl
{

/// Whether the current context says when the GPU was reset and all that is in the context is lost. Surfaces ask for
/// such contexts; not every driver has them.
bool tellsResets();

/// Whether it was reset, which a context that tells it says from then on.
bool isReset();

} // namespace gui::gl
