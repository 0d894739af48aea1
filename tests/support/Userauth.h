#pragma once

#include <gtest/gtest.h>
#include <json/json.h>

#include <map>
#include <sstream>
#include <string>

#include "ChildProcess.h"

// A finished run of the console host.
class Userauth : public ChildProcess {
public:
    explicit Userauth(const std::wstring& arguments) : ChildProcess(L"userauth.exe", arguments), m_code(Finish()) {}

    // The steps of a run with --json by their names; fails the test where a line of the output is no step.
    std::map<std::string, Json::Value> Steps() const {
        std::map<std::string, Json::Value> steps;
        std::istringstream lines(m_output);
        for (std::string line; std::getline(lines, line);) {
            Json::Value step;
            std::istringstream text(line);
            EXPECT_NO_THROW(text >> step) << line;
            EXPECT_TRUE(step.isObject()) << line;
            steps[step.get("step", "").asString()] = step;
        }
        return steps;
    }

    const int m_code;
};
