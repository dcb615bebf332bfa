// The road of the helper that shows the icon.
#pragma once

/// `zefserverui -statusicon <words of the launch pipe> <parameters>`: runs until its link ends, and gives the status of
/// the process, 1 if it could not run.
int runStatusIcon(int argc, char** argv);
