#pragma once

#include "support/ViewModelFixture.h"

/// The application as a user meets it, in process, for the window tests: the view-model fixture over the address book
/// of García (a mobile), Smith (a work and a home number), -Dash (an e-mail address only) and the company 3M, with the
/// weather served and the welcome screen staying (no hand-over timer). `valid` says whether all of it could be set up.
struct AppEnvironment : ViewModelFixture
{
    AppEnvironment();
    bool valid = false;
};
