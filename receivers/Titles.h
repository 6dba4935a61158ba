#pragma once

namespace quillet::receivers {

/// The names of the receivers in the download log. Two pairs deliberately share one.
inline constexpr const char* CategoriesTitle = "품목분류 자료수신";
inline constexpr const char* ProductsTitle = "품목 자료수신"; ///< and their availability
inline constexpr const char* OptionNamesTitle = "품목(옵션설정) 자료수신";
inline constexpr const char* CourseMenusTitle = "품목(코스) 자료수신";
inline constexpr const char* OptionMenusTitle = "품목(옵션) 자료수신";
inline constexpr const char* SetMenusTitle = "품목(세트) 자료수신";
inline constexpr const char* MembersTitle = "회원 자료수신"; ///< and trade partners
inline constexpr const char* UsersTitle = "사용자 자료수신";
inline constexpr const char* GlobalSettingsTitle = "설정 자료수신";
inline constexpr const char* StoreSettingsTitle = "가맹점별설정 자료수신";
inline constexpr const char* AccountTitlesTitle = "계정과목 자료수신";
inline constexpr const char* BusinessInformationTitle = "사업장정보 자료수신";

} // namespace quillet::receivers
