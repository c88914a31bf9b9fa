#pragma once

// Marks what a shared library offers to others; everything else is built with hidden visibility.
#define ZEL_EXPORT __attribute__((visibility("default")))
