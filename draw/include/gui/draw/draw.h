#pragma once

// All public headers of guigl::draw: what is drawn in the plane, above gui::gl. Begin with Path.

#include "Affine.h"
#include "Drawing.h"
#include "FillRule.h"
#include "FillTessellator.h"
#include "FontTag.h"
#include "GlyphImage.h"
#include "Image.h"
#include "Labels.h"
#include "Paint.h"
#include "ParagraphStyle.h"
#include "Path.h"
#include "PathSegment.h"
#include "Polylines.h"
#include "Stroke.h"
#include "TextEditor.h"
#include "TextLayout.h"
#include "TextPlacement.h"
#include "TextStyle.h"
#include "Typeface.h"
#include "Unit.h"
