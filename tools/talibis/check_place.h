// Where findings stand: the text of their line, and for those without a line the block that they speak of.

#pragma once

#include "tools/talibis/check_finding.h"

#include <span>
#include <string>

/// Sets file, place, block and source text of each finding of the file at `path`. A finding that came while
/// another file was read, such as a package model beside the component file, gets its place in that file.
void FindPlaces(const std::string& path, std::span<Finding> findings);
