#include "uiharness.h"
#include "zrvinfo.h"
#include "zrvquery.h"

#include <QMetaObject>

#include <gtest/gtest.h>

using DialogTest = UiTest;

TEST_F(DialogTest, TheSharedItemsAreInstalled)
{
    EXPECT_EQ(Obd::ZrvQuery::view(), ui->dialog());
    EXPECT_EQ(Obd::ZrvInfo::view(), ui->banner());
    EXPECT_NE(ui->dialog(), nullptr);
    EXPECT_NE(ui->banner(), nullptr);
}

TEST_F(DialogTest, BannerWithoutIconShowsTextForThreeSeconds)
{
    QObject* banner = ui->banner();
    {
        Obd::ZrvInfo info;
        info.setText("Hello there");
        info.show();
    }
    EXPECT_EQ(banner->property("text").toString(), "Hello there");
    EXPECT_EQ(banner->property("iconSource").toString(), "");
    EXPECT_EQ(banner->property("timeout").toInt(), 3000);
    EXPECT_TRUE(banner->property("shown").toBool());
    spin(1500);
    EXPECT_TRUE(banner->property("shown").toBool()) << "hid before its time-out";
    EXPECT_TRUE(waitUntil([&] { return !banner->property("visible").toBool(); }, 8000))
        << "the banner did not hide itself";
}

TEST_F(DialogTest, BannerTakesIconAndTimeout)
{
    QObject* banner = ui->banner();
    Obd::ZrvInfo info("With icon");
    info.setIconSource("qrc:///link.png");
    info.setTimeout(600);
    info.show();
    EXPECT_EQ(banner->property("iconSource").toString(), "qrc:///link.png");
    EXPECT_EQ(banner->property("timeout").toInt(), 600);
    EXPECT_TRUE(waitUntil([&] { return !banner->property("shown").toBool(); }, 5000));
}

TEST_F(DialogTest, QueryFillsTheDialogAndOpensIt)
{
    Obd::ZrvQuery query;
    query.setTitle("Clear codes");
    query.setText("Clear all trouble codes?");
    query.setButtonTexts("Yes", "No");
    query.show();
    QObject* dialog = ui->dialog();
    EXPECT_EQ(dialog->property("titleText").toString(), "Clear codes");
    EXPECT_EQ(dialog->property("message").toString(), "Clear all trouble codes?");
    EXPECT_EQ(dialog->property("acceptButtonText").toString(), "Yes");
    EXPECT_EQ(dialog->property("rejectButtonText").toString(), "No");
    EXPECT_TRUE(dialog->property("visible").toBool());
}

TEST_F(DialogTest, OnlyTheQueryShownLastHearsTheAnswer)
{
    Obd::ZrvQuery first;
    Obd::ZrvQuery second;
    int firstAccepted = 0, firstRejected = 0, secondAccepted = 0, secondRejected = 0;
    QObject::connect(&first, &Obd::ZrvQuery::accepted, [&] { ++firstAccepted; });
    QObject::connect(&first, &Obd::ZrvQuery::rejected, [&] { ++firstRejected; });
    QObject::connect(&second, &Obd::ZrvQuery::accepted, [&] { ++secondAccepted; });
    QObject::connect(&second, &Obd::ZrvQuery::rejected, [&] { ++secondRejected; });

    first.show();
    second.show();
    QMetaObject::invokeMethod(ui->dialog(), "accept");
    EXPECT_EQ(firstAccepted, 0);
    EXPECT_EQ(secondAccepted, 1);

    first.show();
    QMetaObject::invokeMethod(ui->dialog(), "reject");
    EXPECT_EQ(firstRejected, 1);
    EXPECT_EQ(secondRejected, 0);
    EXPECT_EQ(firstAccepted + secondAccepted, 1);
}

TEST_F(DialogTest, AnAnsweredQueryHearsNoLaterAnswer)
{
    Obd::ZrvQuery query;
    int accepted = 0;
    QObject::connect(&query, &Obd::ZrvQuery::accepted, [&] { ++accepted; });
    query.show();
    query.show();
    QMetaObject::invokeMethod(ui->dialog(), "accept");
    EXPECT_EQ(accepted, 1) << "showing twice must not answer twice";
    QMetaObject::invokeMethod(ui->dialog(), "accept");
    EXPECT_EQ(accepted, 1);
    EXPECT_FALSE(ui->dialog()->property("visible").toBool());
}
