#pragma once

#include <string_view>

// What the platform expects on the wire and what it answers. Written for the platform alone, on purpose: a value that
// client and platform took from one place could be wrong on both sides and nobody would see it.
namespace sandbox {

// The client that this platform knows.
inline constexpr std::string_view kApplicationId = "104862915";
inline constexpr std::string_view kPackageName = "com.zorvan.cloud.pc";
inline constexpr std::string_view kProductTag = "NimbaPC";
inline constexpr std::string_view kUserAgent = "NimbaPC/11.2.4.301";

// Fixed header values of the client.
inline constexpr std::string_view kAccountHost = "account.example.com";
inline constexpr std::string_view kAcceptLanguage = "zh-CN";
inline constexpr std::string_view kDeviceType = "6";
inline constexpr std::string_view kTerminal = "PC";
inline constexpr std::string_view kAuthVersion = "1";
inline constexpr std::string_view kOsBrand = "Windows";
inline constexpr std::string_view kJsonContentType = "application/json";
inline constexpr std::string_view kSiteCookie = "siteID=1";
inline constexpr std::string_view kManualActivation = "manual";
inline constexpr std::string_view kAuthorizationKind = "6";  // the first field of an encoded authorization
inline constexpr std::string_view kBearerPrefix = "Bearer ";
inline constexpr std::string_view kServerKeyKind = "EC_256";
inline constexpr std::string_view kTemporaryKeyAgreement = "ECDH";
inline constexpr std::string_view kUserKeyEncryption = "AES_128";
inline constexpr std::string_view kClientTrustMode = "1";
inline constexpr std::string_view kNullBody = "null\n";  // of a POST that has nothing to say
inline constexpr std::string_view kLoginDevicesBody = "{\"version\":\"2.0\"}\n";
inline constexpr std::string_view kUserRegisterBody = "{\"params\": [\"clientLogReport\"]}";
inline constexpr int kDeviceIdDigits = 32;    // hexadecimal
inline constexpr int kDeviceNameUnits = 250;  // at most, of UTF-16

// Trace id: command, this code, Unix time and random digits, joined by underscores.
inline constexpr std::string_view kTraceIdCode = "11";
inline constexpr int kTraceCommandDigits = 5;  // at least
inline constexpr int kTraceRandomDigits = 8;
inline constexpr char kTraceFirstRandomMax = '7';
inline constexpr char kTraceRandomMax = '8';
inline constexpr unsigned kTraceClockToleranceSeconds = 24 * 60 * 60;
inline constexpr unsigned kCommandRefresh = 10005;
inline constexpr unsigned kCommandCodeExchange = 10006;
inline constexpr unsigned kCommandApplicationToken = 10006;
inline constexpr unsigned kCommandLoginDevices = 10007;
inline constexpr unsigned kCommandRegistration = 12003;

// Paths.
inline constexpr std::string_view kPathCodeExchange = "/pcclient/getAccessTokenByCode";
inline constexpr std::string_view kPathRefresh = "/pcclient/refreshtoken";
inline constexpr std::string_view kPathApplicationToken = "/pcclient/getAppAccessToken";
inline constexpr std::string_view kPathRegistration = "/pcclient/getRegisterInfo";
inline constexpr std::string_view kPathGateway = "/gateway";
inline constexpr std::string_view kPathSync = "/drive/v1/about";
inline constexpr std::string_view kPathUserInformation = "/KeCloudUserInformationService/v1/users";
inline constexpr std::string_view kPathServerKey = "/KeCloudUserInformationService/v1/keys/publicKey";
inline constexpr std::string_view kPathUserKeys = "/KeCloudUserInformationService/v1/keys";
inline constexpr std::string_view kPathPhotos = "/photos/";  // a photo's name follows
inline constexpr std::string_view kPathRouting = "/routing/v1/remote";
inline constexpr std::string_view kPathConfigurationFetch = "/KeCloudUserFoundationService/PC/sysConfInit";
inline constexpr std::string_view kPathConfigurationRefresh = "/KeCloudUserFoundationService/PC/sysConfRefresh";
inline constexpr std::string_view kPathOperationRecord = "/KeCloudUserFoundationService/PC/postOpDesc";
inline constexpr std::string_view kPathUserRegister = "/KeCloudUserFoundationService/PC/getUserRegister";
inline constexpr std::string_view kPathLoginDevices = "/KeCloudUserFoundationService/PC/getLastOperationRecord";
inline constexpr std::string_view kPathContactsExport = "/contacts/v1/export";

// Queries. The gateway's is the access token, URL-encoded, between these two.
inline constexpr std::string_view kGatewayQueryStart = "access_token=";
inline constexpr std::string_view kGatewayQueryEnd =
    "&nsp_fmt=JSON&nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID";
inline constexpr std::string_view kSyncQuery = "fields=user(userId)";
inline constexpr std::string_view kUserInformationQuery = "fields=userId,displayName,profilePhotoLink";
inline constexpr std::string_view kUserKeysQueryStart = "dataType=";

// Result codes of the portal.
inline constexpr std::string_view kResultSuccess = "0";
inline constexpr std::string_view kResultCodeRefused = "31204";
inline constexpr std::string_view kResultRefreshRefused = "31205";
inline constexpr std::string_view kResultBadToken = "40101";
inline constexpr std::string_view kResultBadHeader = "40001";
inline constexpr std::string_view kResultBadQuery = "40002";
inline constexpr std::string_view kResultBadBody = "40003";
inline constexpr int kOauthStatusSuccess = 200;
inline constexpr int kOauthStatusRefused = 400;
inline constexpr int kOauthSubErrorCodeRefused = 20152;

}  // namespace sandbox
