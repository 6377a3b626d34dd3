#version 120

// Coverage of one pixel of a stroke: opacity, times the pen's softness across the stroke, times anti-aliasing at its
// edge, and for a pencil times the grain of the paper.

uniform float feather;              // half the width of the soft edge, in pixels
uniform float renderScale;          // pixels of the image per pixel of the paper
#ifdef EVEN_PAPER
const int pen_type = 1;             // whichever it is, it does not show the grain
#else
uniform int pen_type;               // 0 is the pencil, the only one that shows the grain
#endif
uniform sampler1D curve_softness;   // red: softness from centre (0) to edge (1); green: how much grain
uniform sampler2D paper_texture;    // red: tooth of the paper; green: grain of the pen
uniform vec2 paper_texture_offset;  // where the image lies on the paper, in pixels of the image
uniform vec2 paper_texture_size;    // in texels

varying float opacity;
varying float radius;
varying vec2 normal;

const int pencil = 0;
const float maxSpread = 8.0; // paper pixels; a stroke of at least this radius has its grain in a rim only
const float minSpread = 3.0; // paper pixels; a stroke of at most this radius has the grain of this one
const float rounding = 1.0e-3; // what an interpolated radius may be off by, in pixels

vec4 curveAt(float position)
{
    return texture1D(curve_softness, position);
}

// How far out on the curve's grain a point is that lies `inside` pixels within an outline of radius `outline`.
float grainPosition(float inside, float outline)
{
    if (outline >= maxSpread * renderScale) {
        float rim = max(0.0, 4.0 / max(inside, 1.0e-4));
        return clamp(1.0 - pow(inside / outline, rim), 0.0, 1.0);
    }
    return 1.0 - inside / max(outline, minSpread * renderScale);
}

void main()
{
    // The interpolated normal is shorter than 1 within the stroke: its length is the share of the way to the edge.
    float toCenter = length(normal) * (radius + feather);
    float toEdge = radius - toCenter;
    float antiAliasing = clamp((toEdge + feather) / (2.0 * feather), 0.0, 1.0);

    // A stroke of exactly the bound must not fall apart into both cases.
    bool thin = radius <= max(renderScale, feather) + rounding;
    float softnessPosition = thin ? 0.5 : toCenter / (radius - feather);
    float coverage = curveAt(softnessPosition).r;

    if (pen_type == pencil) {
        float inside = max(toEdge + feather, 0.0);
        float position = thin ? 1.5 - pow(max(radius, 0.0), 0.25) : grainPosition(inside, radius + feather);
        vec2 place = vec2(paper_texture_offset.x + gl_FragCoord.x, paper_texture_offset.y - gl_FragCoord.y);
        vec4 grain = texture2D(paper_texture, place / renderScale / paper_texture_size);
        coverage *= (1.0 - curveAt(position).g * grain.g) * grain.r;
    }

    // After the look-ups: they need their neighbours' positions to choose a level of detail.
    if (toEdge < -feather)
        discard;
    gl_FragColor = vec4(opacity * coverage * antiAliasing);
}
