#include <ParamStore.h>

#include <chrono>
#include <regex>

#include "LoggerFixture.h"

using Masking = LoggerTest;

TEST_F(Masking, NoSecretReachesASink) {
    const wchar_t* rows[] = {
        L"https://h/p?access_token=CANARY,x;y&control=kept",
        L"https://h/p?next=%2Fq%3Faccess_token%3DCANARY control=kept",
        L"Access_Token = CANARY control=kept",
        L"refresh_token=Bearer CANARY&control=kept",
        L"control=kept accessToken: CANARY, CANARY",
        L"control=kept\r\nrefreshToken: CANARY\r\nuserId: 1",
        L"X-Refresh-Token:CANARY;CANARY\ncontrol=kept",
        L"{\"refreshToken\":\"CANARY\",\"control=kept\":1}",
        L"{\"accessToken\" : \n \"a\\\"CANARY\\\\\", \"control=kept\":1}",
        L"{\"accessToken\":12CANARY,\"control=kept\":1}",
        L"{\"control=kept\":0,\"accessToken\":[\"CANARY\",{\"b\":\"CANARY\"}]}",
        L"{\"body\":\"{\\\"accessToken\\\":\\\"a\\\\\\\"CANARY\\\",\\\"control=kept\\\":1}\"}",
        L"{'Authorization': 'CANARY', 'control=kept': 1}",
        L"control=kept\nproxy-AUTHORIZATION: Digest user=\"CANARY\", response=\"CANARY\"\nnext",
        L"sent bEARER CANARY, control=kept",
        L"(Bearer%20CANARY&control=kept",
        L"\"Bearer \\\"CANARY\\\"\" control=kept",
        L"Bearer <CANARY> control=kept",
        L"access_token=<CANARY>&control=kept",
        L"access_token=\"\"CANARY control=kept",
        L"accessToken:\"a\"CANARY control=kept",
        L"access_token=a'CANARY control=kept",
        L"access_token=a\\\"CANARY control=kept",
        L"{\"url\":\"https://h/p?access_token=CANARY\",\"control=kept\":1}",
        L"control=kept\r\nrefreshToken:\r\n CANARY\r\n\tCANARY\r\nuserId: 1",
        L"control=kept q=%7B%22access_token%22%3A%22CANARY%22%7D",
        L"q=%2522access_token%2522%20%253D%2522CANARY%2522&control=kept",
        L"accessToken\\u003dCANARY control=kept",
        L"control=kept \\u0022accessToken\\u0022:\\u0022CANARY",
        L"{\"token\" : \"CANARY\",\"control=kept\":1}",
        L"{\"name\":\"access_token\",\"value\":\"CANARY\",\"control=kept\":1}",
        L"<param name='access_token' type='x' value='CANARY'/> control=kept",
        L"[\"access_token\", \"CANARY\", \"control=kept\"]",
        L"{\"grant_type\":\"authorization_code\",\"code\":\"CANARY\",\"control=kept\":1}",
        L"{&quot;accessToken&quot;:&quot;CANARY,CANARY&quot;,&quot;control=kept&quot;:1}",
        L"<x:access_token a=\"b\"><![CDATA[CANARY]]></x:access_token><b>control=kept</b>",
        L"control=kept\ntoken: CANARY",
        L"'access_token' => 'CANARY', 'control=kept'",
        L"control=kept\r\nCookie: a=CANARY; b=CANARY",
        L"control=kept\r\nSet-Cookie: a=CANARY; Path=/CANARY",
        L"Bearer\r\n CANARY control=kept",
        L"\"token\" refused: access_token=CANARY control=kept \"value\": 3",
        L"Bearer \n<access_token>CANARY</access_token> control=kept",
        L"https://h/p?code=CANARY&authCode=CANARY&authorizationCode=CANARY&bearerToken=CANARY&control=kept",
        L"id_token=CANARY&temp_token=CANARY&access_token[0]=CANARY&control=kept",
        L"auth_code=CANARY&authorization-code=CANARY&Bearer+CANARY&control=kept",
        L"access\\u005ftoken=CANARY&access%5Ftoken=CANARY&access_token&#61;CANARY&control=kept",
    };
    testing::internal::CaptureStderr();
    Configure(true);
    for (const wchar_t* row : rows) {
        Write(row, kSeverityFailure);
        Logger::OutputOperationLog(
            1, 2, 3,
            {{L"note", row}, {L"accessToken", L"CANARY"}, {L"token", L"CANARY"}, {L"user-Authorization", L"CANARY"}});
    }
    Logger::Output(10, kSeverityFailure, 1, "access_token=CANARY", L"code=987654, access_token=9876", true);
    Logger::OutputOperationLog(1, 2, 3);
    const std::string operations = ReadBack(L"client.log.operations.jsonl");
    for (const std::string& text : {ReadBack(L"client.log"), operations, testing::internal::GetCapturedStderr()}) {
        EXPECT_EQ(text.find("CANARY"), std::string::npos) << text;
        EXPECT_EQ(text.find("=9876"), std::string::npos) << "shorter than this it is a status, and a token never is";
        EXPECT_EQ(CountOf("control=kept", text), std::size(rows)) << text;  // what is no secret arrives
    }
    EXPECT_EQ(CountOf("\n", operations), std::size(rows) + 1);
    EXPECT_NE(operations.find("{\"action\":3,\"event\":1,\"operation\":2,\"time\":\""), std::string::npos)
        << operations;
}

TEST_F(Masking, LinesWithoutSecretsArriveUnchanged) {
    const std::string rows[] = {
        "RequestAT\nUrl:https://h/pcclient/refreshtoken?traceId=1\nHttpCode:200\nResultCode:0\nDescription:",
        "https://h/gw?nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID",
        "refresh AT error statusCode: 401",
        "RequestCountryCode httpcode:200",
        "Get ApplyAT Failed! httpcode = 401",
        "exit code: 5, code=404, {\"code\":\"0\"}",
        "check user key sha256 success, keyType:1",
        "x-zv-auth-version: 1, grant_type=authorization_code&x=1",
        "<token_type>jwt</token_type>",
        "barcode=4006381333931, error-code=internal, status_code=unknown, code=12345;",
        "{\"kind\":\"token\",\"name\":\"visible\"}",
        "{\"kind\":\"token\"},{\"value\":\"visible\"}",
        "<access_token/>visible<b>",
        "a forbearer visible",
    };
    for (const std::string& row : rows) {
        Write(Wide(row));
    }
    const std::string text = ReadBack(L"client.log");
    for (const std::string& row : rows) {
        EXPECT_NE(text.find(" " + std::regex_replace(row, std::regex("\n"), "\n    ") + "\n"), std::string::npos)
            << row << "\n"
            << text;
    }
}

TEST_F(Masking, KnownSecretReachesNoSinkInAnyForm) {
    const std::string secret = "CANARY~~/?+3\"==";
    const std::string rows[] = {
        secret,
        "CANARY%7E%7e%2f%3F%2B3%22%3D%3d",
        "CANARY%257E%257E%252F%253F%252B3%2522%253D%253D",
        "{\"a\":\"CANARY~~\\/?+3\\\"==\"}",
        "\\u0043ANARY\\u007e~/?\\u002B3\\u0022==",
        "\\x43ANARY~~/?+3\\x22==",
        "<a b=\"CANARY~~/?+3&quot;&#61;&#x3D;\"/>",
        "c:\\" + secret + secret,
        "100%25%43ANARY%7E~/?+3%22==",
        "Q0FOQVJZfn4vPyszIj09Pw==",  // base64 with 0, 1 and 2 bytes in front, then with the other alphabet
        "P0NBTkFSWX5+Lz8rMyI9PT8=",
        "Pz9DQU5BUll+fi8/KzMiPT0/",
        "Pz9DQU5BUll-fi8_KzMiPT0_",
        "deed43414e4152597e7e2f3f2b33223d3dbeef",
        "x'43414E4152597E7E2F3F2B33223D3D'",
    };
    std::wstring utf16;
    for (const char c : secret) {
        utf16 += {static_cast<wchar_t>(c), L'\0'};
    }
    ASSERT_TRUE(Logger::SetSecret("test", Wide(secret)));
    testing::internal::CaptureStderr();
    Configure(true);
    for (const std::string& row : rows) {
        Write(Wide(row) + L" kept", kSeverityFailure);
        Logger::OutputOperationLog(1, 2, 3, {{L"a", Wide(row) + L" kept"}, {Wide(row), L""}});
    }
    Write(utf16 + L"kept", kSeverityFailure);
    Write(std::wstring(64 * 1024 - 3, L'-') + Wide(secret) + L" beyond");  // cut in the middle
    Write(std::wstring(64 * 1024 - 3, L'-') + Wide(rows[2]));
    EXPECT_NE(ReadBack(L"client.log").find("---*** [cut: 19 more]\n"), std::string::npos);
    for (const std::string& text :
         {ReadBack(L"client.log"), ReadBack(L"client.log.operations.jsonl"), testing::internal::GetCapturedStderr()}) {
        EXPECT_GE(CountOf("kept", text), std::size(rows));
        EXPECT_EQ(text.find("xC"), std::string::npos);
        EXPECT_EQ(text.find("\\x00A"), std::string::npos);
        for (const std::string& row : rows) {
            EXPECT_EQ(text.find(row.substr(row.size() / 3, 6)), std::string::npos) << row << "\n" << text;
        }
    }
}

TEST_F(Masking, SecretsAreReplacedByNameAndBounded) {
    GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    for (const auto setToken :
         {&GlobalParamWrapper::SetCurrentAt, &GlobalParamWrapper::SetCurrentRt, &GlobalParamWrapper::SetAppAT}) {
        (store->*setToken)(L"");  // what another test's session left takes room
    }
    EXPECT_TRUE(Logger::SetSecret("test", L"former secret"));
    EXPECT_TRUE(Logger::SetSecret("test", L"new secret"));
    Write(L"1 former secret, new secret, new+secret.");
    EXPECT_FALSE(Logger::SetSecret("test", L"2 short"));
    Write(L"2 short, new secret.");
    EXPECT_TRUE(Logger::SetSecret("test", L""));
    EXPECT_FALSE(Logger::SetSecret("test", std::wstring(64 * 1024 + 1, L'x')));
    EXPECT_TRUE(Logger::SetSecret("test", std::wstring(64 * 1024 - 8, L'x')));
    EXPECT_FALSE(Logger::SetSecret("second", L"9 letters"));
    EXPECT_TRUE(Logger::SetSecret("second", L"8 letter"));
    EXPECT_TRUE(Logger::SetSecret("second", L""));
    EXPECT_TRUE(Logger::SetSecret("test", L"xlong secret with more"));
    Write(L"4 xlong secret, xlong secret with more.");
    EXPECT_TRUE(Logger::SetSecret("second", L"long secret"));
    Write(L"5 xlong secret, xlong secret with more.");
    EXPECT_TRUE(Logger::SetSecret("second", L"") && Logger::SetSecret("test", L""));
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(Logger::SetSecret("test " + std::to_string(i), L"secret " + std::to_wstring(i)), i < 32) << i;
    }
    for (int i = 0; i < 40; ++i) {
        EXPECT_TRUE(Logger::SetSecret("test " + std::to_string(i), L""));
    }
    store->SetCurrentAt(L"from the parameter store");
    Write(L"3 from the parameter store.");
    store->SetCurrentAt(L"");
    const std::string text = ReadBack(L"client.log");
    for (const char* line :
         {"1 former secret, ***, ***.", "2 short, new secret.", "3 ***.", "4 xlong secret, ***.", "5 x***, ***."}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
    }
}

TEST_F(Masking, LongHostileTextIsMaskedInLinearTime) {
    ASSERT_TRUE(Logger::SetSecret("test", std::wstring(30000, L'r') + L'!'));
    std::wstring text = L"accessToken \\\\ bearer rrrrrrrr%25";
    for (int doubling = 0; doubling < 11; ++doubling) {
        text += text;
    }
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        Write(text + L"access_token=CANARY");
    }
    EXPECT_EQ(ReadBack(L"client.log").find("CANARY"), std::string::npos);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}
