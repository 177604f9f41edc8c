// Visibility of the layer's interface: everything is hidden unless marked.
#pragma once
#define FS_EXPORT __attribute__((visibility("default")))
