#pragma once
// Lets a test reach a private member without the class naming the test:
// an explicit instantiation may name private members, and the instantiated
// template hands the member pointer out through a friend function.
//   KX_PRIVATE_MEMBER(StackOf, &CSceneMgr::m_cameraStack);
//   scene.*privateMember(StackOf{})  // the member itself
template <typename Tag, auto Pointer>
struct KxPrivateMember {
  friend constexpr auto privateMember(Tag) { return Pointer; }
};

#define KX_PRIVATE_MEMBER(Tag, pointer)          \
  struct Tag {                                   \
    friend constexpr auto privateMember(Tag);    \
  };                                             \
  template struct KxPrivateMember<Tag, pointer>
