// The colours of a grid's numbers: as many as there are samples in a pixel, mixed. The table has 256 colours first.
noperspective in vec2 pixel;
uniform vec4 toPlace; // factors of x and y, and what is added: places on the axes
uniform vec4 toCell;  // likewise, from values to cells
uniform vec4 look;    // 1 for a logarithmic x, for a logarithmic y, for smooth; samples each way
uniform vec2 cells;
uniform vec2 range;   // the number of the first colour, and 255 over the distance to the last one
out vec4 color;

float number(ivec2 cell)
{
    cell = clamp(cell, ivec2(0), ivec2(cells) - 1);
    return uintBitsToFloat(texelFetch(table, 256 + cell.y * int(cells.x) + cell.x).x);
}

vec4 colorAt(vec2 at)
{
    vec2 place = at * toPlace.xy + toPlace.zw;
    // Chosen, not mixed: a power may be infinite.
    vec2 value = vec2(look.x > 0.0 ? pow(10.0, place.x) : place.x, look.y > 0.0 ? pow(10.0, place.y) : place.y);
    vec2 cell = value * toCell.xy + toCell.zw;
    if (any(lessThan(cell, vec2(0.0))) || any(greaterThan(cell, cells)))
        return vec4(0.0);
    float n;
    if (look.z > 0.0)
    {
        vec2 corner = floor(cell - 0.5), part = cell - 0.5 - corner;
        ivec2 c = ivec2(corner);
        n = mix(mix(number(c), number(c + ivec2(1, 0)), part.x),
                mix(number(c + ivec2(0, 1)), number(c + ivec2(1, 1)), part.x), part.y);
    }
    else
        n = number(ivec2(floor(cell)));
    if (isnan(n))
        return vec4(0.0);
    vec4 c = unpacked(texelFetch(table, int(clamp((n - range.x) * range.y + 0.5, 0.0, 255.0))).x);
    return vec4(c.rgb * c.a, c.a);
}

void main()
{
    int n = int(look.w);
    vec4 sum = vec4(0.0);
    for (int i = 0; i < n * n; ++i)
        sum += colorAt(floor(pixel) + (vec2(i % n, i / n) + 0.5) / float(n));
    color = sum / float(n * n);
}
