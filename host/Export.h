// Visibility of what the host's libraries hand to a plug-in.
#pragma once

/// Marks a class or function of the host that a plug-in may link against. Everything else in the
/// host's libraries is built hidden.
#define HOST_API __attribute__((visibility("default")))
