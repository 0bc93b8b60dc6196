#pragma once

#include <QString>

/// What --help prints: use, every option of the table in its group, what a photograph in work needs, exit statuses
/// and examples. Lines of at most 80 columns.
QString helpText();

/// What --version prints.
QString versionText();
