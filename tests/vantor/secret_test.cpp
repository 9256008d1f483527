#include <gtest/gtest.h>

#include "vantor/binding.h"

namespace {

TEST(Secret, IsSeenInAnySpelling) {
  for (const char* dictionary : {
           "postgresql://u:pw@h/d",
           "POSTGRES://u:pw@h/d",
           "postgresql://u%3Apw%40h/d",
           "postgresql://u:p/w@h/d",
           "postgresql://u:p?w@h/d",
           "postgresql://u:pw/d",
           "postgresql://[::1]:pw/d",
           "postgresql:u:pw@h/d",
           "postgresql:u:pw/d",
           "postgres:/u:pw@h/d",
           "postgres:pw@h/d",
           "xpostgresql://u:pw@h/d",
           "u:pw@h/d",
           "sqlite:postgresql://u:pw@h/d",
           "sqlite://u:pw@h/d",
           "sqlite:u:pw@h",
           "Sqlite:host=h password=pw",
           "sqlite:host=h password=pw",
           "postgresql://h/d?password=pw",
           "postgresql://h/d?passw%6Frd=pw",
           "postgresql://h/d?%2570assword=pw",
           "postgresql://h/d?sslmode=require&sslpassword=pw",
           "host=h password=pw",
           "host=h password \t\n\v\f\r='p w'",
           "host=h PassWord = pw",
           "host=h sslpassword=pw",
           "host=h password pw",
           "host=h password:pw",
           "Host=h;Pwd=pw",
           "host=h passfile=f password=pw",
           "host=u:pw@h",
       }) {
    EXPECT_TRUE(tav_text_holds_password(dictionary)) << dictionary;
  }
}

TEST(Secret, IsNotSeenWhereNoneIs) {
  for (const char* dictionary : {
           "",
           "sqlite:dictionary.db",
           "sqlite:/srv/a:b@c/passes=2.db",
           "sqlite:/srv/a:b@c.db",
           "sqlite:password",
           "sqlite:postgres.db",
           "shop.db",
           "mysql:x",
           "postgresql://",
           "postgresql://u@h:5432/d?sslmode=verify-full",
           "postgresql://h1:1,h2:,[::1]:5432/d?application_name=a:b",
           "postgresql:///d?passfile=/home/u/.pgpass",
           "postgresql://h/passwords?user=u",
           "host=h passfile = p user=u@realm",
           "require_auth=password host=h",
           "dbname=passwords",
           "service=dictionary",
       }) {
    EXPECT_FALSE(tav_text_holds_password(dictionary)) << dictionary;
  }
}

}  // namespace
