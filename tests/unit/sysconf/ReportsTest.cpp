#include <HttpLib.h>

#include "ServiceFixture.h"

using Reports = ServiceTest;

TEST_F(Reports, ReportLoginTimeIsVisibleInTheLogOnly) {
    constexpr char kOperation[] = "ReportLoginTime";
    for (const int code : {200, 500, static_cast<int>(kHttpConnectFailed)}) {
        const std::string status = std::to_string(code);
        Recording().replies = {{code, "[", {}}};
        m_service->ReportLoginTime("n\xC3\xA9");
        EXPECT_EQ(Recording().TakeOutcome(),
                  Log("2", kOperation, "ReportLoginTime httpcode:" + status + "  ReportLoginTime business:n\xC3\xA9") +
                      Log("0", kOperation, "ReportLoginTime\nUrl:" + kBasicService + "postOpDesc\nHttpCode:" + status));
    }
}

TEST_F(Reports, RequestClientLogReportKeepsTheFlagOnEveryFailure) {
    const std::string yes = R"({"result":0,"resultMap":{"clientLogReport":"true"}})";
    constexpr char kOperation[] = "RequestClientLogReport";
    const struct : ReplyRow {
        bool flag;
    } rows[] = {
        {"server error", 500, yes, false, false},
        {"yes", 201, yes, true, true},
        {"no content", 204, "", false, true},
        {"not JSON", 200, "{\"result\":0", false, true},
        {"no result", 200, R"({"resultMap":{}})", false, true},
        {"no map", 200, R"({"result":0})", false, true},
        {"result 1", 200, R"({"result":1,"resultMap":{}})", false, true},
        {"result is a text", 200, R"({"result":"0","resultMap":{}})", false, true},
        {"result too large", 200, R"({"result":9999999999,"resultMap":{}})", false, true},
        {"array", 200, "[0]", false, true},
        {"flag missing", 200, R"({"result":0,"resultMap":{}})", true, false},
        {"boolean, and a result that converts to 0", 200, R"({"result":false,"resultMap":{"clientLogReport":true}})",
         true, true},
        {"map is an array", 200, R"({"result":null,"resultMap":["clientLogReport"]})", false, true},
        {"map is a text", 200, R"({"result":0,"resultMap":"clientLogReport"})", false, true},
        {"map is null", 200, R"({"result":null,"resultMap":null})", true, false},
    };
    for (const auto& row : rows) {
        const std::string status = std::to_string(row.status);
        EXPECT_EQ(Outcome(row, &UserAuthService::RequestClientLogReport),
                  Log("2", kOperation, "requestClientLogReport HttpCode: " + status) +
                      Log("0", kOperation,
                          "RequestClientLogReport\nUrl:" + kBasicService + "getUserRegister\nHttpCode:" + status))
            << row.name;
        EXPECT_EQ(m_service->GetClientLogReportStatus(), row.flag) << row.name;
    }
}

TEST_F(Reports, GetLoginDevicesHistoryAppendsWhatTheListHas) {
    constexpr char kOperation[] = "GetLoginDevicesHistory";
    const std::string four =
        R"({"opRecordList":[{"aliasName":"é\u0000x","devDisplayName":"d","deviceCategory":"c",)"
        R"("deviceId":"i","lastUpdateTime":"t","opDesc":"o","deviceType":3.7},)"
        R"({"aliasName":null,"deviceType":null,"opDesc":5},{"deviceType":"3"},{"deviceType":3000000000}]})";
    const struct : ReplyRow {
        std::size_t devices;
    } rows[] = {
        {"created is a failure here", 201, four, false, 0},
        {"no exchange", kHttpTimeout, "", false, 0},
        {"four", 200, four, true, 4},
        {"appended", 200, four, true, 8},
        {"no list", 200, "{}", true, 8},
        {"list is an object", 200, R"({"opRecordList":{"0":{}}})", true, 8},
        {"not JSON", 200, "oops", true, 8},
        {"array", 200, "[[]]", true, 8},
        {"element is no object", 200, R"({"opRecordList":[7]})", true, 9},
    };
    std::vector<DeviceTag> devices;
    for (const auto& row : rows) {
        EXPECT_EQ(Outcome(row, [&](auto& service) { return service.GetLoginDevicesHistory(devices); }),
                  row.result
                      ? Log("0", kOperation, row.body) + Log("2", kOperation, "GetLoginDevicesHistory successed!")
                      : Log("5", kOperation, "Error: GetLoginDevicesHistory failed!"))
            << row.name;
        EXPECT_EQ(devices.size(), row.devices) << row.name;
    }
    const DeviceTag& full = devices[0];
    EXPECT_EQ(full.aliasName, L"\u00E9");
    EXPECT_EQ(full.devDisplayName, L"d");
    EXPECT_EQ(full.deviceCategory, L"c");
    EXPECT_EQ(full.deviceId, L"i");
    EXPECT_EQ(full.lastUpdateTime, L"t");
    EXPECT_EQ(full.opDesc, L"o");
    EXPECT_EQ(full.deviceType, 3);
    EXPECT_EQ(full.reservedText, L"");
    EXPECT_EQ(full.reservedNumber, 0);
    for (const std::size_t empty : {1, 2, 3, 8}) {
        EXPECT_EQ(devices[empty].aliasName, L"") << empty;
        EXPECT_EQ(devices[empty].opDesc, L"") << empty;
        EXPECT_EQ(devices[empty].deviceType, 0) << empty;
    }
    EXPECT_EQ(Recording().url, L"https://basic.example.com/KeCloudUserFoundationService/PC/getLastOperationRecord");
    EXPECT_EQ(Recording().postData, L"{\"version\":\"2.0\"}\n");
    const std::wstring traceId = Recording().requestHeaders.at(L"x-zv-trace-id");
    EXPECT_EQ(traceId.substr(0, 9), L"10007_11_");
    EXPECT_EQ(Recording().requestHeaders, UserAuthServiceAccess::BuildHeaders(*m_service, HeadType::kAccount, traceId));
}
