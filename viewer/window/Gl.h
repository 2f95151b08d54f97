#pragma once

/// OpenGL 1.4 and 2.0's textures of any size, as every system declares them.

#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
