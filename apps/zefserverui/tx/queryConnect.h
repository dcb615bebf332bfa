// The road "-QueryConnectApp": asks the person at the desktop whether somebody may connect.
#pragma once

/// Runs the prompt until its link ends, and gives the exit status. What fails is in the log and on stderr.
int runQueryConnect(int argc, char** argv);
