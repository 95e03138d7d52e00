#pragma once

#include <QString>

/// Writes a vdir address book root: `books` folders holding `count` contacts in all, one .vcf file each, in the
/// shapes phones and sync tools write (UID, N, FN, two numbers, an e-mail, an organisation now and then, accents).
/// Returns false when a file could not be written.
bool generateVdir(const QString &root, int count, int books = 10);
