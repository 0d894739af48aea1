#include "request/JsonData.h"

JsonData::JsonData(const Json::Value& value) : m_value(value) {}

JsonData::~JsonData() {
    // The library's clear() throws on a plain text or number.
    if (m_value.isArray() || m_value.isObject()) {
        m_value.clear();
    }
}
