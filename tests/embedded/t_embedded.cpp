// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <QTest>

#include "embedded/Engine.h"

using embedded::Engine;
using embedded::Error;

class TestEmbedded : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void Smoke();
};

void TestEmbedded::Smoke()
{
    QTemporaryDir dir;
    auto engine = Engine::Create(dir.filePath("a.db"));
    try {
        engine->RunScript(R"(create table dbo._iptblBanks (
  idBank int identity(1,1) not null constraint PK_Banks primary key,
  cCode varchar(10) not null, cBSBNumber varchar(10) null, cName varchar(50), bActive bit not null default 1,
  dDate datetime null, fRate money null)
GO
create unique index IX_Code on _iptblBanks (cCode)
create index IX_BSB on _iptblBanks (cBSBNumber, idBank)
GO
create table _btblNotes (idNote int identity(1,1) primary key, cTable varchar(50), iKey int)
GO
create view dbo._ipvBanks as select B.idBank, B.cCode, B.cBSBNumber, B.cCode + ' - ' + ISNULL(B.cName, '') as cFull, N.idNote
from _iptblBanks B left join _btblNotes N on N.iKey = B.idBank and N.cTable = '_iptblbanks'
GO
)", "x.sql");
        engine->Run("insert _iptblBanks (cCode, cBSBNumber, cName, dDate) values (:c, :b, :n, :d)",
                    {{"c", "ANZ  "}, {"b", "012-003"}, {"n", "x"}, {"d", QDate(2020, 1, 2)}});
        auto o = engine->Run("select top 10 * from _ipvBanks where cCode = 'anz'");
        qDebug() << o.rows.columns << o.rows.rows << o.identity;
        qDebug() << engine->Translate("select top 100 idBank, cCode from _ipvBanks where cBSBNumber >= :a and (cBSBNumber > :a or idBank > :id) order by cBSBNumber, idBank");
        engine->RunScript(R"(create procedure _ipsp @a int, @b varchar(10) output as
begin
  declare @n int
  select @n = count(*) from _iptblBanks where idBank >= @a
  if @n > 0 set @b = 'many' else set @b = 'none'
  update _iptblBanks set bActive = 0 where idBank = @a
  return @@rowcount
end
)", "p");
        QVariantMap p{{"a", 1}, {"b", QString()}};
        int r = engine->Call("_ipsp", p);
        qDebug() << r << p;
    } catch (const Error &e) {
        qDebug() << e.text << e.statement;
        QFAIL("x");
    }
}

QTEST_GUILESS_MAIN(TestEmbedded)
#include "t_embedded.moc"
