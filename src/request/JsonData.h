#pragma once

#include <json/value.h>

// Polymorphic holder of one JSON value: a request's body.
class JsonData {
public:
    JsonData() = default;
    explicit JsonData(Json::Value value);
    JsonData(const JsonData&) = default;
    JsonData& operator=(const JsonData&) = default;
    virtual ~JsonData();

    Json::Value m_value;
};
