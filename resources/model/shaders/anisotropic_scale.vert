#version 120

// Moves the vertices of a stroke from its centre line out to its edge, and a little further, so that the fragment
// shader has room for a soft edge. The stroke's own edge is found before the transform and the room is added after it,
// so that a scale that differs by direction stretches the stroke and not its anti-aliasing.

uniform mat4 projection; // pixels of the framebuffer to clip space
uniform mat4 transform;  // paper to pixels
uniform float feather;   // half the width of the soft edge, in pixels

attribute vec4 posAttr;  // point of the centre line; tangent of the stroke there
attribute vec2 colAttr;  // opacity; radius
attribute vec3 typeAttr; // edge type; tangent for anti-aliasing

varying float opacity;
varying float radius; // in pixels, measured across the transformed stroke
varying vec2 normal;  // 1 long at the edge, 0 at the centre line

// A cap of radius 0 has null tangents; it must collapse to a point, not to something undefined.
vec2 unit(vec2 v)
{
    float size = length(v);
    return size > 0.0 ? v / size : vec2(0.0);
}

vec2 mapDirection(vec2 direction)
{
    return (transform * vec4(direction, 0.0, 0.0)).xy;
}

vec2 mapPoint(vec2 point)
{
    return (transform * vec4(point, 0.0, 1.0)).xy;
}

// The outward unit normal of the stroke in pixels. It is taken from the mapped tangent, because a skew does not keep
// right angles; a mirroring transform swaps the stroke's sides.
vec2 outwardNormal(vec2 tangent, float type)
{
    if (abs(type) < 0.5)
        return vec2(0.0);
    vec2 mapped = unit(mapDirection(unit(tangent)));
    bool flip = transform[0][0] * transform[1][1] - transform[0][1] * transform[1][0] < 0.0;
    bool right = type < 0.0;
    return right != flip ? vec2(-mapped.y, mapped.x) : vec2(mapped.y, -mapped.x);
}

void main()
{
    float type = typeAttr.x;
    float localRadius = colAttr.y;

    vec2 localEdge = posAttr.xy;
    if (abs(type) > 0.5) {
        vec2 tangent = unit(posAttr.zw);
        vec2 left = vec2(tangent.y, -tangent.x) * localRadius;
        localEdge += type > 0.0 ? left : -left;
    }

    vec2 outward = outwardNormal(posAttr.zw, type);
    vec2 edge = mapPoint(localEdge);

    opacity = colAttr.x;
    radius = type == 0.0 ? length(mapDirection(vec2(localRadius, 0.0)))
                         : dot(edge - mapPoint(posAttr.xy), outward);
    // Both rim vertices of a cap's triangle share one normal, so that its length is 1 all along the chord between them.
    normal = abs(type) < 0.75 ? outwardNormal(typeAttr.yz, type) : outward;
    gl_Position = projection * vec4(edge + outward * feather, 0.0, 1.0);
}
