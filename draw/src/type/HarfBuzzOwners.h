#pragma once

#include <hb.h>

#include <memory>

namespace gui::draw
{

/// Ends what HarfBuzz and others count by reference.
template <auto release>
struct Release
{
    template <typename T>
    void operator()(T* p) const
    {
        release(p);
    }
};
using Blob = std::unique_ptr<hb_blob_t, Release<hb_blob_destroy>>;
using Face = std::unique_ptr<hb_face_t, Release<hb_face_destroy>>;

} // namespace gui::draw
