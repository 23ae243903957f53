flat in uint shape;
flat in vec4 fillColor;
flat in vec4 edgeColor;
flat in float number;
flat in vec2 halfBox;
noperspective in vec2 place;
out vec4 color;

// Below 0 inside of a regular polygon, one corner of which is at the top; r is that of the circle around it.
float polygon(vec2 p, float n, float r)
{
    float part = 6.2831853 / n, angle = atan(p.x, -p.y);
    angle -= part * floor(angle / part) + 0.5 * part;
    return length(p) * cos(angle) - r * cos(0.5 * part);
}

float star(vec2 p, float r)
{
    // Folded to one half of one of five points; its side goes from the tip to the inner corner.
    float part = 6.2831853 / 5.0, angle = atan(p.x, -p.y);
    angle = abs(angle - part * floor(angle / part + 0.5));
    vec2 q = length(p) * vec2(sin(angle), cos(angle));
    vec2 tip = vec2(0.0, r), corner = 0.42 * r * vec2(sin(0.5 * part), cos(0.5 * part)), side = corner - tip;
    vec2 normal = normalize(vec2(-side.y, side.x));
    return -dot(q - tip, normal);
}

float boxes(vec2 p, vec2 a) { return max(abs(p.x) - a.x, abs(p.y) - a.y); }

void main()
{
    vec2 size = abs(place);
    if (shape == 0u || shape == 2u)
    {
        // How much of the pixel lies in the box, both ways.
        vec2 part = clamp(halfBox - place + 0.5, 0.0, 1.0) - clamp(-halfBox - place + 0.5, 0.0, 1.0);
        float covered = part.x * part.y;
        if (shape == 2u)
        {
            float along = (halfBox.x > halfBox.y ? place.x + halfBox.x : place.y + halfBox.y) / number;
            covered *= clamp(number * (0.25 - abs(fract(along) - 0.25)) + 0.5, 0.0, 1.0);
        }
        color = fillColor * covered;
        return;
    }
    if (shape == 1u)
    {
        vec2 q = size - halfBox + number;
        float d = length(max(q, 0.0)) + min(max(q.x, q.y), 0.0) - number;
        color = fillColor * clamp(0.5 - d, 0.0, 1.0);
        return;
    }
    float r = halfBox.x, d = 0.0;
    vec2 p = place;
    switch (int(shape) - 3)
    {
    case 0: d = length(p) - r; break;
    case 1: d = boxes(p, vec2(0.88 * r)); break;
    case 2: d = (size.x + size.y - 1.2 * r) * 0.70710678; break;
    case 3: d = polygon(p - vec2(0.0, 0.15 * r), 3.0, 1.2 * r); break;
    case 4: d = polygon(vec2(p.x, -p.y) - vec2(0.0, 0.15 * r), 3.0, 1.2 * r); break;
    case 5: d = polygon(vec2(p.y, p.x) - vec2(0.0, 0.15 * r), 3.0, 1.2 * r); break;
    case 6: d = polygon(vec2(p.y, -p.x) - vec2(0.0, 0.15 * r), 3.0, 1.2 * r); break;
    case 7: d = polygon(p, 5.0, 1.1 * r); break;
    case 8: d = polygon(p, 6.0, 1.05 * r); break;
    case 9: d = star(p, 1.25 * r); break;
    case 10: d = min(boxes(p, vec2(r, max(0.22 * r, 0.5))), boxes(p, vec2(max(0.22 * r, 0.5), r))); break;
    case 11:
        p = vec2(p.x + p.y, p.x - p.y) * 0.70710678;
        d = min(boxes(p, vec2(r, max(0.22 * r, 0.5))), boxes(p, vec2(max(0.22 * r, 0.5), r)));
        break;
    case 12: d = boxes(p, vec2(max(0.18 * r, 0.5), r)); break;
    default: d = boxes(p, vec2(r, max(0.18 * r, 0.5))); break;
    }
    float inner = clamp(0.5 - d - number, 0.0, 1.0), outer = clamp(0.5 - d, 0.0, 1.0);
    color = number > 0.0 ? fillColor * inner + edgeColor * (outer - inner) : fillColor * outer;
}
