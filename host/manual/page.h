#pragma once
#include <string>
#include <vector>
#include "host/manual/shown.h"
namespace host { std::string manualPage(const std::vector<ShownGroup>& groups); }
