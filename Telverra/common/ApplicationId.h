#pragma once

/// The application's identifier: the desktop file's name, the D-Bus name, GeoClue's desktop id and the Wayland app id.
/// Here, below every subsystem, so that any of them can name it without reaching up into the application shell.
inline constexpr const char *applicationId = "org.telverra.Telverra";
