// Marks what the host's libraries offer to a procedure module. Everything without the mark stays inside the runtime:
// the runtime is compiled with hidden visibility, so a module that calls past the interface does not link.
#pragma once

#define HOST_API __attribute__((visibility("default")))
