#include "request/JsonData.h"

#include <utility>

JsonData::JsonData(Json::Value value) : m_value(std::move(value)) {}

JsonData::~JsonData() {
    // The library's clear() throws on a plain text or number.
    if (m_value.isArray() || m_value.isObject()) {
        m_value.clear();
    }
}
