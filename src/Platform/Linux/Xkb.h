#pragma once

#include <xcb/xcb.h>

// One of its structures has a field with the name of a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
