#include "UserAuthService.h"

RefreshTokenOperate::~RefreshTokenOperate() = default;
