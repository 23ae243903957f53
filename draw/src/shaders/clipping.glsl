// Planes that cut away what is behind one of them (clipKind 0), or behind all of them (1). Places are distances from
// the reference.
#ifdef CLIPPED
uniform vec4 clipPlanes[6];
uniform int clipKind;

float distanceOfPlane(int i, vec3 place) { return dot(clipPlanes[i].xyz, place) + clipPlanes[i].w; }

// For a fragment: whether it lies in a notch. What planes cut off never becomes one.
bool isInNotch(vec3 place)
{
    bool isBehind = clipKind == 1;
    for (int i = 0; i < 6; ++i)
        isBehind = isBehind && distanceOfPlane(i, place) < 0.0;
    return isBehind;
}

// For a point: whether it is cut away in one way or the other.
bool isCutAway(vec3 place)
{
    bool isBehindOne = false;
    for (int i = 0; i < 6; ++i)
        isBehindOne = isBehindOne || distanceOfPlane(i, place) < 0.0;
    return clipKind == 1 ? isInNotch(place) : isBehindOne;
}

// OpenGL ES may have no distances to cut triangles by: there a plane takes pixels.
#if defined(GL_ES) && !defined(GL_EXT_clip_cull_distance)
#define BY_PIXEL
#endif

// For a fragment of a surface.
bool isLeftOut(vec3 place)
{
#ifdef BY_PIXEL
    return isCutAway(place);
#else
    return isInNotch(place);
#endif
}

#ifdef CLIPS
// For a vertex, where CLIPS is defined: what GL cuts triangles by.
#ifdef BY_PIXEL
void clipAt(vec3 place) {}
#else
out float gl_ClipDistance[6];
void clipAt(vec3 place)
{
    for (int i = 0; i < 6; ++i)
        gl_ClipDistance[i] = clipKind == 1 ? 1.0 : distanceOfPlane(i, place);
}
#endif
#endif
#endif
