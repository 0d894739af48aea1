#pragma once

constexpr int FOLDERID_LocalAppData = 28;
