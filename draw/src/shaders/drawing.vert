// One quad of a shape: two triangles of a fill, or what encloses one of its edges, one line of a stroke or the tip of
// one of its mitres, or one of its glyphs. It only says which pixels are looked at; the fragment shader finds how much
// of each is covered.

flat out int shape;
flat out int kind;
flat out uint flags;
flat out uvec4 parts;     // colour, nodes, how many, points
flat out ivec2 middle;    // the viewport's middle in the shape's steps,
flat out vec2 toMiddle;   // and what is to be added to a point's distance from it
flat out vec4 stepsToPixels;
#ifdef STROKES
flat out vec4 toBrush; // what its Nib is
flat out vec4 brushSizes;
flat out float miterLimit;
#endif

// Quads from this number on are boxes around whole shapes, by the numbers of their records.
const int cBoxes = 1 << 28;
// Pixels up to which a shape is one box: its parts would look at most pixels more than once.
const float cSmall = 16.0;
// The same for parts of a shape: a box around some lines.
const float cSmallPart = 8.0;
// Lines that are looked at faster than a tree; while a shape is small, as many as the fragment shader has bits for.
const int cFew = 8, cMany = 28;
// Pixels that rasterizers work at together, along either axis.
const float cBlock = 2.0;
// Up to which a line's quad is a rectangle of such blocks.
const float cShort = 4.0;
// Half of a pixel's side, and of its diagonal, and a little more.
const float cSide = 0.51, cDiagonal = 0.72;

// In pixels, along the axis where it is larger.
float sizeOf(ivec4 box, Place place)
{
    vec2 size = mat2(abs(place.pixels[0]), abs(place.pixels[1])) * vec2(box.zw - box.xy);
    return max(size.x, size.y);
}

// Of a rectangle, as far as it takes for whole blocks of pixels. What is looked at once costs nothing when another quad
// comes there.
vec2 cornerOf(vec2 low, vec2 high, int c)
{
    vec2 p = vec2((c & 1) == 0 ? low.x : high.x, (c & 2) == 0 ? low.y : high.y) + halfSize;
    vec2 block = p / cBlock;
    return vec2((c & 1) == 0 ? floor(block.x) : ceil(block.x), (c & 2) == 0 ? floor(block.y) : ceil(block.y)) * cBlock -
           halfSize;
}

#ifdef PICTURES
flat out ivec2 toTexel;
#endif
#ifdef COLORS
out vec3 coloredAt;
#endif
#if defined GLYPHS && (defined GRADIENTS || defined HALOS)
flat out vec4 textPixels; // what its Text is
flat out vec4 textAnchor;
#endif
#ifdef HALOS
flat out ivec2 haloAt; // the element, and one more than where its neighbours stand among the links
#endif

void main()
{
    int quad = gl_VertexID / 4, c = gl_VertexID % 4;
    bool isBoxAlone = quad >= cBoxes;
    uvec4 element = isBoxAlone ? uvec4(quad - cBoxes, uvec3(0u)) : elementOf(quad);
    shape = int(element.x & 0x0fffffffu);
    kind = isBoxAlone ? cBox : int(element.x >> 28);
    uvec4 state = texelFetch(shapes, 6 * shape + 2);
    flags = state.z;
    parts = texelFetch(shapes, 6 * shape + 3);
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
#ifdef HALOS
    haloAt = ivec2(quad - cLongQuads, kind == cPlaced ? int(element.w) : 0);
#endif
#ifdef PLACED
    if (kind == cPlaced)
    {
        if (isHidden(element))
            return;
        kind = cGlyph;
    }
#endif
    if ((flags & cVisible) == 0u || parts.z == 0u && kind != cGlyph)
        return;
    Place place = placeOf(shape);
#ifdef GLYPHS
    uvec4 glyph = kind == cGlyph ? texelFetch(glyphs, 2 * int(element.y)) : uvec4(0u);
    uvec4 more = kind == cGlyph ? texelFetch(glyphs, 2 * int(element.y) + 1) : uvec4(0u);
    uvec2 picture = more.zw;
    Text text = textOf(shape, (flags & cWidthInPoints) != 0u, place);
    text.isOnRows = text.isOnRows && (flags & cSymbol) == 0u;
    if ((flags & cFrame) != 0u && text.isOnRows)
        text.anchor.x = floor(text.anchor.x + halfSize.x + 0.5) - halfSize.x;
#if defined GRADIENTS || defined HALOS
    textPixels = vec4(text.pixels[0], text.pixels[1]);
    textAnchor = vec4(text.anchor, text.size, text.isOnRows ? 1.0 : 0.0);
#endif
#ifdef PICTURES
    if (int(picture.x) < 0 && (flags & cGradient) == 0u && (picture.x & cColored) == 0u)
    {
        kind = cPicture;
        if (any(greaterThan(abs(text.anchor), vec2(1e6))))
            return;
        ivec4 box;
        findPicture(penOf(text.anchor) + wayTo(element), picture, box, toTexel);
        vec2 corner = vec2((c & 1) == 0 ? box.x : box.z, (c & 2) == 0 ? box.y : box.w) - halfSize;
        gl_Position = vec4(corner / halfSize, depthOf(state.w), 1.0);
        return;
    }
#endif
    if (kind == cGlyph)
    {
        place = placeOfGlyph(text, element, glyph, more);
#ifdef COLORS
        if ((picture.x & cColored) != 0u)
        {
            kind = cColoredPicture;
            parts.x = (flags & cGradient) != 0u ? 0xffffffffu : parts.x;
            if (int(picture.x) < 0)
                gl_Position = vec4(coloredCorner(place, picture, c, coloredAt) / halfSize, depthOf(state.w), 1.0);
            return;
        }
#endif
        if ((picture.x & cPaint) != 0u)
        {
            // As faint as the text.
            uint alpha = (flags & cGradient) != 0u ? 255u : parts.x >> 24;
            parts.x = picture.y & 0xffffffu | ((picture.y >> 24) * alpha + 127u) / 255u << 24;
            flags &= ~cGradient;
        }
        parts.yzw = glyph.xyz;
    }
#else
    if (kind == cGlyph)
        return;
#endif
    middle = place.middle;
    toMiddle = place.toMiddle;
    stepsToPixels = vec4(place.pixels[0], place.pixels[1]);
    ivec4 box = texelFetch(nodes, 2 * int(parts.y));
    if (!isBoxAlone && kind != cGlyph && (sizeOf(box, place) <= cSmall) != (kind == cBox))
        return;
    if (kind != cTriangles && kind != cBox && kind != cGlyph)
    {
        // Of a line and the nodes around it one is drawn: the largest that is small, or the line.
        box = texelFetch(nodes, 2 * int(parts.y + (kind == cNode ? element.y : element.z)));
        bool isSmall = sizeOf(box, place) <= cSmallPart;
        if (isSmall != (kind == cNode))
            return;
        if (kind == cNode && sizeOf(texelFetch(nodes, 2 * int(parts.y + element.z)), place) <= cSmallPart)
            return;
    }
    float straight = 1.0 / 64.0 / stretchOf(place);
#ifdef STROKES
    if ((flags & cStroke) != 0u)
    {
        Nib nib = nibOf(place, shape, flags);
        toBrush = vec4(nib.own[0], nib.own[1]);
        brushSizes = vec4(nib.radius, nib.reach, nib.straight, nib.mostTurn);
        miterLimit = nib.miterLimit;
        straight = nib.straight;
    }
#endif
    ivec4 root = texelFetch(nodes, 2 * int(parts.y) + 1);
    float size_ = sizeOf(box, place);
#ifdef STROKES
    // Where all or none of the leaves are as good as straight, and nothing above them is, there need be no tree.
    int n = root.z - root.y;
    if (kind == cBox && (flags & cStroke) != 0u && n > 0 && size_ > 1.0 && (n <= cFew || size_ <= cSmall))
    {
        ivec3 forms = ivec3(texelFetch(shapes, 6 * shape + 5).xy, texelFetch(shapes, 6 * shape + 4).w);
        vec3 deviations = vec3(deviationOf(forms.x), deviationOf(forms.y), deviationOf(forms.z));
        vec3 turns = vec3(turnOf(forms.x), turnOf(forms.y), turnOf(forms.z));
        bvec3 areStraight = lessThan(deviations, vec3(straight)), areEven = lessThan(turns, vec3(brushSizes.w));
        if (!(areStraight.y && areEven.y))
            flags |= areStraight.x && areEven.x ? (n <= 4 * cMany ? cChords : 0u)
                     : !(areStraight.z && areEven.z) && n <= cMany ? cLines : 0u;
    }
#endif
    if (kind == cBox && !isLeaf(root.w) && (flags & (cChords | cLines)) == 0u && deviationOf(root.w) >= straight &&
        size_ > 1.0)
        flags |= cEntered;
    int base = int(parts.w);
    float half_ = 0.0, reach = 1.0;
    if ((flags & cStroke) != 0u)
    {
        half_ = uintBitsToFloat(texelFetch(shapes, 6 * shape + 4).x) *
                ((flags & cWidthInPoints) != 0u ? pixelsPerPoint : stretchOf(place));
        reach = uintBitsToFloat(texelFetch(shapes, 6 * shape + 5).w);
        // Where right angles don't stay right, corners stick out farther.
        if ((flags & cWidthInPoints) == 0u &&
            pow(stretchOf(place), 2.0) > 1.001 * abs(determinant(place.pixels)))
            half_ *= 1.4143;
    }
    vec2 p = vec2(0.0);
    vec2 low = -halfSize - 1.0, high = halfSize + 1.0;

    if (kind == cTriangles)
    {
        // Within a node that is small, which is drawn instead.
        float size = powerOfTwo(int(element.y >> 27));
        if (max(abs(place.pixels[0].x) + abs(place.pixels[1].x), abs(place.pixels[0].y) + abs(place.pixels[1].y)) *
                size <= cSmallPart)
            return;
        vec2 t[4];
        ivec4 numbers = ivec4(element.yzw & cPointBits, 0);
        for (int i = 0; i < 3; ++i)
            t[i] = pixelOf(place, texelFetch(points, base + numbers[i]).xy);
        vec2 least = min(min(t[0], t[1]), t[2]), most = max(max(t[0], t[1]), t[2]);
        float farthest = max(max(-least.x, -least.y), max(most.x, most.y));
        float slack = 1.0 + farthest * 4e-7;
        if (any(greaterThan(least, high + slack)) || any(lessThan(most, low - slack)))
            return;
        if (farthest > cFar)
        {
            // Its edges are not where they should be: all of the viewport is looked at instead.
            kind = cEdge;
            p = vec2((c & 1) == 0 ? low.x : high.x, (c & 2) == 0 ? low.y : high.y);
        }
        else
            p = t[min(c, 2)];
    }
    else if (kind == cBox || kind == cNode || kind == cGlyph)
    {
        vec2 size = mat2(abs(place.pixels[0]), abs(place.pixels[1])) * vec2(box.zw - box.xy);
        vec2 c0 = place.pixels * ((stepsOf(place, box.xy) + stepsOf(place, box.zw)) / 2.0);
        vec2 extent = size / 2.0 + half_ * reach + cSide;
#ifdef HALOS
        if (haloAt.y != 0)
            extent += mat2(abs(place.pixels[0]), abs(place.pixels[1])) *
                      vec2(haloMargin(place, uintBitsToFloat(texelFetch(shapes, 6 * shape + 4).x),
                                      (flags & cWidthInPoints) != 0u));
#endif
        if (any(greaterThan(abs(c0), high + extent)))
            return;
        p = cornerOf(c0 - extent, c0 + extent, c);
    }
    else
    {
        int i = base + texelFetch(nodes, 2 * int(parts.y + element.z) + 1).y + int(element.y);
        ivec2 pa = strokePoint(i), pb = strokePoint(i + 1);
        vec2 a = pixelOf(place, pa), b = pixelOf(place, pb);
        shorten(place, pa, pb, a, b);
        float across = half_ + cDiagonal;
        vec2 along = b - a;
        float len = length(along);
        along = len > 0.0 ? along / len : vec2(1.0, 0.0);
        // A pixel's own size: half of its diagonal.
        float extra = across;
        if (kind == cTip)
        {
            // From the corner to the tip of the mitre, along the middle between both lines.
            vec2 before = a - pixelOf(place, strokePoint(i - 1));
            vec2 axis = normalize(before) - along;
            axis = dot(axis, axis) > 0.0 ? normalize(axis) : vec2(1.0, 0.0);
            float sine = length(normalize(before) - along) / 2.0; // of half of the angle between, from the outside
            // cos of half the angle between the directions is sin of half the angle at the corner.
            float halfAngle = sqrt(max(1.0 - sine * sine, 0.0));
            float tip = (across + 1.0) / max(halfAngle, 1e-3);
            b = a + axis * tip;
            along = axis;
            extra = 1.0;
        }
        vec2 normal = vec2(-along.y, along.x);
        vec2 least = min(a, b) - 1.5 * across - 1.0, most = max(a, b) + 1.5 * across + 1.0;
        if (any(greaterThan(least, high)) || any(lessThan(most, low)))
            return;
        p = ((c & 1) == 0 ? a - along * extra : b + along * extra) +
            normal * ((c & 2) == 0 ? -across : across);
        // As far as the quad's own corners, for mitres that have no tip of their own.
        if (kind != cTip && len <= cShort)
            p = cornerOf(min(a, b) - half_ * 1.4143 - cDiagonal, max(a, b) + half_ * 1.4143 + cDiagonal, c);
    }
    gl_Position = vec4(p / halfSize, depthOf(state.w), 1.0);
}
