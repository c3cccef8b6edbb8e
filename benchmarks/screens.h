// The benchmarks of the screens, which are compared with work by hand rather than with peers.
#pragma once

void RegisterScreens();
