// Steps of the start that the roads with windows share.
#pragma once

/// Identity, directories, configuration and log of this program, its name being "zefserverui-" and the product mode.
/// `programPath` is argv[0].
void initProduct(const char* programPath, bool fileLogging);

/// The same for the helper that shows the icon: its name ends in "-statusicon", it reads no configuration and logs to
/// standard error.
void initStatusIconProduct(const char* programPath);

/// The parameters on the command line, null-terminated; a bad one, or a call for help, ends the process.
void setParameters(char** args);

/// Pictures, fonts, windows and elements, in the looks of the desktop. Once, with the loop made.
void setupToolkit();
