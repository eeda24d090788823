Host=x
AuthMech=3
