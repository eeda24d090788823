// Removal of the synthetic catalog name from statement text: the cached form
// (TEUtils, compiled patterns kept per name) against the form that compiles
// the three patterns for every stretch of text outside string literals, on
// the same statements in the same run. Statements per second are the
// "items_per_second" counter, throughput the "bytes_per_second" counter.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "thrift/TECatalogRemovalPatterns.h"
#include "thrift/TEUtils.h"

using Tarni::ThriftExtension::TECatalogRemovalPatterns;
using Tarni::ThriftExtension::TEUtils;

namespace
{
const std::string NAME = "SPARK";

/// Compiles the three patterns for each stretch outside a literal, then
/// applies them: the removal without the cache.
void RemoveCompilingEveryCall(const std::string& in_name, std::string& io_query, bool in_betweenDots)
{
    if (io_query.empty())
    {
        return;
    }
    std::string result;
    bool isOutside = true;
    size_t start = 0;
    while (true)
    {
        const size_t quote = io_query.find('\'', start);
        std::string piece = io_query.substr(start, quote == std::string::npos ? std::string::npos : quote - start);
        if (isOutside)
        {
            TECatalogRemovalPatterns(in_name).Apply(piece, in_betweenDots);
        }
        result += piece;
        if (quote == std::string::npos)
        {
            break;
        }
        result += '\'';
        isOutside = !isOutside;
        start = quote + 1;
    }
    io_query.swap(result);
}

/// Statements as business-intelligence tools send them: qualified with the
/// synthetic catalog in the forms the tools use, with literals, joins and
/// sub-queries, and some without the name at all.
std::vector<std::string> ShortStatements()
{
    return {
        "SELECT * FROM SPARK.default.orders LIMIT 100",
        "SELECT `SPARK`.`default`.`orders`.`id`, `SPARK`.`default`.`orders`.`amount` FROM `SPARK`.`default`.`orders` "
        "WHERE `SPARK`.`default`.`orders`.`status` = 'SPARK.shipped'",
        "SELECT o.id, c.name FROM \"SPARK\".sales.orders o JOIN \"SPARK\".sales.customers c ON o.customer_id = c.id "
        "WHERE c.region IN ('EMEA', 'APAC') AND o.created > '2024-01-01'",
        "SELECT COUNT(*) FROM (SELECT DISTINCT customer_id FROM [SPARK].sales.orders WHERE amount > 100) t",
        "SELECT region, SUM(amount) AS total FROM SPARK.sales.orders GROUP BY region ORDER BY total DESC",
        "INSERT INTO SPARK.staging.events VALUES (1, 'click', '2024-05-01 10:00:00'), (2, 'view', '2024-05-01 10:00:01')",
        "SELECT name FROM default.customers WHERE name LIKE 'A%'",
        "SHOW TABLES IN SPARK.default",
        "SELECT a.x, b.y FROM (SPARK.db1.a a CROSS JOIN SPARK.db2.b b) WHERE a.k = b.k",
        "SELECT CAST(amount AS DECIMAL(18,2)), CONCAT(first_name, ' ', last_name) FROM SPARK.hr.employees",
        "DESCRIBE SPARK.default.orders",
        "SELECT 1",
        "WITH recent AS (SELECT * FROM SPARK.sales.orders WHERE created >= date_sub(current_date(), 7)) "
        "SELECT customer_id, COUNT(*) FROM recent GROUP BY customer_id HAVING COUNT(*) > 3",
        "SELECT * FROM global_temp.session_view",
        "SELECT t1.c1, t2.c2 FROM SPARK.s.t1 t1 LEFT OUTER JOIN SPARK.s.t2 t2 ON t1.id = t2.id "
        "WHERE t2.c2 IS NULL OR t2.c2 <> 'n/a'",
        "UPDATE SPARK.default.flags SET enabled = false WHERE name = 'legacy'",
    };
}

/// About 100 kB: a generated report query with many qualified columns,
/// literals and sub-queries.
std::string LargeStatement()
{
    std::string query = "SELECT ";
    for (int i = 0; query.size() < 60 * 1024; ++i)
    {
        query += "SPARK.sales.facts.measure_" + std::to_string(i) + " AS m" + std::to_string(i) + ", CASE WHEN " +
                 "SPARK.sales.facts.kind_" + std::to_string(i) + " = 'k" + std::to_string(i) +
                 "' THEN 1 ELSE 0 END AS f" + std::to_string(i) + ",\n  ";
    }
    query += "0 AS last FROM SPARK.sales.facts JOIN (SELECT id FROM SPARK.sales.dims WHERE label IN (";
    for (int i = 0; query.size() < 100 * 1024; ++i)
    {
        query += "'label " + std::to_string(i) + "', ";
    }
    query += "'end')) d ON SPARK.sales.facts.dim_id = d.id";
    return query;
}

size_t TotalBytes(const std::vector<std::string>& in_statements)
{
    size_t total = 0;
    for (const std::string& statement : in_statements)
    {
        total += statement.size();
    }
    return total;
}

/// Both forms must give the same text; the benchmark is void otherwise.
void CheckSameOutput(const std::vector<std::string>& in_statements)
{
    for (const std::string& statement : in_statements)
    {
        for (const bool betweenDots : {false, true})
        {
            std::string cached = statement;
            std::string compiled = statement;
            TEUtils::RemoveCatalogOrTempSchemaFromQueryString(NAME, cached, betweenDots, nullptr);
            RemoveCompilingEveryCall(NAME, compiled, betweenDots);
            if (cached != compiled)
            {
                std::fprintf(stderr, "Outputs differ for: %s\n", statement.c_str());
                std::abort();
            }
        }
    }
}

template <typename Remove>
void Run(benchmark::State& io_state, const std::vector<std::string>& in_statements, Remove in_remove)
{
    CheckSameOutput(in_statements);
    std::string work;
    for (auto _ : io_state)
    {
        for (const std::string& statement : in_statements)
        {
            work = statement;
            in_remove(NAME, work, false);
            benchmark::DoNotOptimize(work.data());
        }
    }
    io_state.SetItemsProcessed(static_cast<int64_t>(io_state.iterations() * in_statements.size()));
    io_state.SetBytesProcessed(static_cast<int64_t>(io_state.iterations() * TotalBytes(in_statements)));
}

void Cached(const std::string& in_name, std::string& io_query, bool in_betweenDots)
{
    TEUtils::RemoveCatalogOrTempSchemaFromQueryString(in_name, io_query, in_betweenDots, nullptr);
}

const std::vector<std::string>& Short()
{
    static const std::vector<std::string> statements = ShortStatements();
    return statements;
}
const std::vector<std::string>& Large()
{
    static const std::vector<std::string> statements = {LargeStatement()};
    return statements;
}
/// The mix a session sends: every short statement ten times, one large one.
const std::vector<std::string>& Mix()
{
    static const std::vector<std::string> statements = [] {
        std::vector<std::string> mix;
        for (int i = 0; i < 10; ++i)
        {
            mix.insert(mix.end(), Short().begin(), Short().end());
        }
        mix.push_back(LargeStatement());
        return mix;
    }();
    return statements;
}

void BM_Short_Cached(benchmark::State& io_state) { Run(io_state, Short(), Cached); }
void BM_Short_CompileEveryCall(benchmark::State& io_state) { Run(io_state, Short(), RemoveCompilingEveryCall); }
void BM_Large100kB_Cached(benchmark::State& io_state) { Run(io_state, Large(), Cached); }
void BM_Large100kB_CompileEveryCall(benchmark::State& io_state) { Run(io_state, Large(), RemoveCompilingEveryCall); }
void BM_Mix_Cached(benchmark::State& io_state) { Run(io_state, Mix(), Cached); }
void BM_Mix_CompileEveryCall(benchmark::State& io_state) { Run(io_state, Mix(), RemoveCompilingEveryCall); }
}  // namespace

BENCHMARK(BM_Short_Cached);
BENCHMARK(BM_Short_CompileEveryCall);
BENCHMARK(BM_Large100kB_Cached);
BENCHMARK(BM_Large100kB_CompileEveryCall);
BENCHMARK(BM_Mix_Cached);
BENCHMARK(BM_Mix_CompileEveryCall);

BENCHMARK_MAIN();
