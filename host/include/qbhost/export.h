// Visibility of the reference host runtime's interface.
#pragma once
#define QBHOST_API __attribute__((visibility("default")))
