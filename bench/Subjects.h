#pragma once

#include "Harness.h"

namespace bench {

// One function a subject, in a file of its own; each adds its rows to the report.
void BenchBase64(Report& report);
void BenchHeaders(Report& report);
void BenchJson(Report& report);
void BenchCrypto(Report& report);
void BenchCounting(Report& report);
void BenchGetters(Report& report);
void BenchRequests(Report& report);
void BenchExport(Report& report);
void BenchLogger(Report& report);
void BenchMemory(Report& report);

// The platform that BenchMemory asks, in a process of its own: writes its origin and its authority to the file, and
// serves for two minutes, or until the process is ended.
void ServePlatform(const std::string& file);

}  // namespace bench
