#pragma once

#include "common/ApplicationId.h"

/// The composition root: reads the command line, builds the platform objects and the window.
namespace Application {

/// How long the bus-activated process waits for another call before it leaves.
inline constexpr int serviceIdleMilliseconds = 60 * 1000;

int run(int argc, char *argv[]);

/// Compiles every QML file of the module and loads the main window without showing it; 0 when all of it loads.
int selfTest();

} // namespace Application
