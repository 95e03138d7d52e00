#pragma once

#include <QString>

#include <optional>

class QRandomGenerator;

/// Sayings from the fortune files Debian installs (fortunes-min in English, fortunes-es in Spanish): the files at the
/// top of a folder that have a strfile index (".dat"), never a subfolder (the offensive sets live in off/) and never
/// a file whose index marks it rotated (ROT13). A saying is picked through the index, without reading whole files,
/// among those that are one paragraph of at most 160 characters in plain text.
namespace FortuneQuotes {

/// Debian's folder of fortune files.
inline constexpr const char *debianFolder = "/usr/share/games/fortunes";
inline constexpr int maximumLength = 160;

/// The folder for a language: the Spanish files live in "es" below the English ones.
QString folderFor(const QString &root, bool spanish);
/// A saying of the folder's files, its lines joined and its spaces collapsed; nothing when the folder holds none.
std::optional<QString> pick(const QString &folder, QRandomGenerator &random);

} // namespace FortuneQuotes
