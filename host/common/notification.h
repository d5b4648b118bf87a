// What the host tells a module about its own loading and unloading.
#pragma once

/// The notifications, sent to the function `LoadNotification` that every module exports with C linkage:
///
///   int LoadNotification(void* module, unsigned int notification, void* reserved);
///
/// `module` is the module's own handle (as dlopen gave it), `reserved` is null. The result is non-zero for success.
enum LoadNotificationCode : unsigned int {
  kProcessDetach = 0,
  kProcessAttach = 1,
  kThreadAttach = 2,
  kThreadDetach = 3,
};

using LoadNotificationHandler = int (*)(void* module, unsigned int notification, void* reserved);

/// A procedure: called once per command, on one thread, with everything bound by the host beforehand.
using ProcedureEntry = void (*)();
